/* What the driver's C side, which needs the system's driver headers, asks of its C++ side, which cannot include them.
   Boards go by their place in `simulator::kBoards`. Calls come one at a time. */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One opened board. */
typedef struct OpenBoard OpenBoard;

/* Opens a board for a process. Returns a system error code, 0 for success; the board is then closed by BoardClose. */
uint32_t BoardOpen(uint32_t board, uint32_t processId, OpenBoard** opened);

/* Takes one control call of a buffered code: the request of `inBytes` is in `buffer`, where the answer of at most
   `outBytes` takes its place. Returns a system error code; with 0, `returned` is the length of the answer. */
uint32_t BoardControl(OpenBoard* opened, uint32_t code, void* buffer, uint32_t inBytes, uint32_t outBytes,
                      uint32_t* returned);

void BoardClose(OpenBoard* opened);

/* The board with this hardware id, two strings with a zero behind the last; -1 for none. */
int BoardOfHardwareId(const uint16_t* hardwareIds);

/* The board's device interface class, 16 bytes in the system's layout. */
const void* BoardInterfaceClass(int board);

#ifdef __cplusplus
}
#endif
