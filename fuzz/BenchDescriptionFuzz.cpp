// Any bytes as the description of a bench. What is accepted is looked at as far as a bench looks at it: the rows, the
// registers of its cards, and the names of its files.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "FuzzInput.h"
#include "simulator/BenchDescription.h"
#include "simulator/BenchError.h"

namespace {

void RequireOneLine(std::string_view text) {
  Require(!text.empty());
  for (const char letter : text)
    Require(static_cast<unsigned char>(letter) >= ' ');
}

void LookAt(const simulator::BenchDescription& description) {
  for (const simulator::FirmwareFile& file : description.files) {
    Require(!file.name.empty() && file.name.size() <= 255 && file.name != "." && file.name != "..");
    Require(file.name.find_first_of("/\\") == std::string::npos);
    if (const auto* rbi = std::get_if<simulator::RbiContent>(&file.content)) {
      Require(rbi->partId.size() == 4 && rbi->payloadBytes <= simulator::kLongestDescribedFile);
    }
  }
  simulator::Bench bench(description.state);
  for (const simulator::PartRow& row : bench.Rows()) {
    Require(row.errors.empty());
    Require(row.running == row.stored);
  }
  for (const simulator::Board* board : simulator::kHostCards) {
    simulator::HostCard* const card = bench.card(*board);
    if (card == nullptr) continue;
    // The area begins with the product's name; a program reads on from there.
    Require((card->Read(0x02000) & 0xFF) == 0x82);
    Require(card->Read(0x03FFC) != 0xFFFFFFFF || card->state().errors.texts().empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  simulator::BenchDescription description;
  try {
    description = simulator::ParseBenchDescription({reinterpret_cast<const char*>(data), size});
  } catch (const simulator::BenchError& error) {
    RequireOneLine(error.what());
    return 0;
  }
  LookAt(description);
  return 0;
}
