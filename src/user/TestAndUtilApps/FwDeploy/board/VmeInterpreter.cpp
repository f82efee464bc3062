#include "board/VmeInterpreter.h"

void VmeInterpreter::AllocVmeBuffer(std::uint8_t opcode, std::uint16_t size) {
  const std::size_t bytes = size / 8u + 2;
  const auto shared = [&](VmeBuffer& buffer) {
    // Another of the four may have been the last: then one of the right size is made anew, and one of a wrong size is
    // kept. Meant to be; who reads into a buffer looks at its true length.
    if (!buffer.empty() && previousSize == size) return;
    buffer.assign(bytes, 0);
    previousSize = size;
  };
  switch (opcode) {
    case kVmeHir:
      return hirData.assign(bytes, 0);
    case kVmeTir:
      return tirData.assign(bytes, 0);
    case kVmeHdr:
      return hdrData.assign(bytes, 0);
    case kVmeTdr:
      return tdrData.assign(bytes, 0);
    case kVmeTdi:
    case kVmeXtdi:
      return shared(tdiData);
    case kVmeTdo:
    case kVmeXtdo:
      return shared(tdoData);
    case kVmeMask:
      return shared(maskData);
    case kVmeDmask:
      return shared(dmaskData);
    case kVmeHeap:
      return heapData.assign(size + std::size_t{2}, 0);
    default:
      return;
  }
}

void VmeInterpreter::FreeVmeBuffers() {
  for (VmeBuffer* buffer :
       {&hirData, &tirData, &hdrData, &tdrData, &tdiData, &tdoData, &maskData, &dmaskData, &heapData})
    *buffer = {};
}
