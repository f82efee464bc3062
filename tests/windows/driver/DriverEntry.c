/* The driver as the system sees it: plug and play, and requests that are handed on to the boards. */

#include <ntifs.h>

#include "BoardDoor.h"

/* Status values that carry a system error code. */
#define STATUS_OF_ERROR(error) ((error) == 0 ? STATUS_SUCCESS : (NTSTATUS)(0xC0070000u | (error)))

/* A library's entry gets a small number where a driver's gets a pointer. */
#define MOST_LIBRARY_REASONS 16

typedef struct {
  DEVICE_OBJECT* lower;
  UNICODE_STRING link;
  int board;
} Extension;

int __stdcall DllMainCRTStartup(void* module, unsigned long reason, void* reserved);
long __stdcall BenchDriverEntry(void* first, void* second, void* third);

static NTSTATUS Complete(IRP* irp, NTSTATUS status, ULONG_PTR information) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = information;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

static NTSTATUS NTAPI Create(DEVICE_OBJECT* device, IRP* irp) {
  FILE_OBJECT* const file = IoGetCurrentIrpStackLocation(irp)->FileObject;
  const Extension* const extension = device->DeviceExtension;
  const uint32_t process = (uint32_t)(ULONG_PTR)PsGetProcessId(IoGetRequestorProcess(irp));
  OpenBoard* opened = NULL;
  const uint32_t error = BoardOpen((uint32_t)extension->board, process, &opened);
  file->FsContext = opened;
  return Complete(irp, STATUS_OF_ERROR(error), 0);
}

static NTSTATUS NTAPI Close(DEVICE_OBJECT* device, IRP* irp) {
  FILE_OBJECT* const file = IoGetCurrentIrpStackLocation(irp)->FileObject;
  (void)device;
  /* An opening that failed is closed too. */
  if (file->FsContext != NULL) BoardClose(file->FsContext);
  file->FsContext = NULL;
  return Complete(irp, STATUS_SUCCESS, 0);
}

static NTSTATUS NTAPI Control(DEVICE_OBJECT* device, IRP* irp) {
  const IO_STACK_LOCATION* const stack = IoGetCurrentIrpStackLocation(irp);
  uint32_t returned = 0;
  (void)device;
  if (stack->FileObject->FsContext == NULL) return Complete(irp, STATUS_INVALID_HANDLE, 0);
  const uint32_t error = BoardControl(stack->FileObject->FsContext, stack->Parameters.DeviceIoControl.IoControlCode,
                                      irp->AssociatedIrp.SystemBuffer,
                                      stack->Parameters.DeviceIoControl.InputBufferLength,
                                      stack->Parameters.DeviceIoControl.OutputBufferLength, &returned);
  return Complete(irp, STATUS_OF_ERROR(error), error == 0 ? returned : 0);
}

static NTSTATUS NTAPI PlugAndPlay(DEVICE_OBJECT* device, IRP* irp) {
  Extension* const extension = device->DeviceExtension;
  DEVICE_OBJECT* const lower = extension->lower;
  const UCHAR request = IoGetCurrentIrpStackLocation(irp)->MinorFunction;

  if (request == IRP_MN_SURPRISE_REMOVAL || request == IRP_MN_REMOVE_DEVICE)
    IoSetDeviceInterfaceState(&extension->link, FALSE);
  if (request == IRP_MN_START_DEVICE || request == IRP_MN_SURPRISE_REMOVAL || request == IRP_MN_REMOVE_DEVICE)
    irp->IoStatus.Status = STATUS_SUCCESS;
  IoSkipCurrentIrpStackLocation(irp);
  NTSTATUS status = IoCallDriver(lower, irp);
  if (request == IRP_MN_START_DEVICE && NT_SUCCESS(status)) status = IoSetDeviceInterfaceState(&extension->link, TRUE);
  if (request == IRP_MN_REMOVE_DEVICE) {
    RtlFreeUnicodeString(&extension->link);
    IoDetachDevice(lower);
    IoDeleteDevice(device);
  }
  return status;
}

static NTSTATUS NTAPI AddDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physical) {
  uint16_t ids[256] = {0};
  ULONG needed = 0;
  NTSTATUS status = IoGetDeviceProperty(physical, DevicePropertyHardwareID, sizeof ids - 4, ids, &needed);
  if (!NT_SUCCESS(status)) return status;
  const int board = BoardOfHardwareId(ids);
  if (board < 0) return STATUS_NO_SUCH_DEVICE;

  DEVICE_OBJECT* device = NULL;
  status = IoCreateDevice(driver, sizeof(Extension), NULL, FILE_DEVICE_UNKNOWN, 0, FALSE, &device);
  if (!NT_SUCCESS(status)) return status;
  Extension* const extension = device->DeviceExtension;
  extension->board = board;
  status = IoRegisterDeviceInterface(physical, BoardInterfaceClass(board), NULL, &extension->link);
  if (!NT_SUCCESS(status)) {
    IoDeleteDevice(device);
    return status;
  }
  extension->lower = IoAttachDeviceToDeviceStack(device, physical);
  device->Flags |= DO_BUFFERED_IO;
  device->Flags &= ~(ULONG)DO_DEVICE_INITIALIZING;
  return STATUS_SUCCESS;
}

static void NTAPI Unload(DRIVER_OBJECT* driver) {
  (void)driver;
}

/* The entry of this file, as a library and as a driver. */
long __stdcall BenchDriverEntry(void* first, void* second, void* third) {
  if ((ULONG_PTR)second < MOST_LIBRARY_REASONS)
    return DllMainCRTStartup(first, (unsigned long)(ULONG_PTR)second, third);
  DRIVER_OBJECT* const driver = first;
  driver->MajorFunction[IRP_MJ_CREATE] = Create;
  driver->MajorFunction[IRP_MJ_CLOSE] = Close;
  driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = Control;
  driver->MajorFunction[IRP_MJ_PNP] = PlugAndPlay;
  driver->DriverExtension->AddDevice = AddDevice;
  driver->DriverUnload = Unload;
  return STATUS_SUCCESS;
}
