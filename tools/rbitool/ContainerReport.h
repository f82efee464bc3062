#pragma once

#include <string>
#include <string_view>

/// Reads a container through the operations of the installer's own container library and reports it as a line of JSON.
///
///     {"header":29,"id":"BLMX","number":null,"payload":4096,"revision":"1161","string":"demo","version":4449}
///
/// `id` and `version` (a number) are what `ReadRbiHeader` gave for the file, `bytes` is its content. `header` and
/// `payload` are null where the file ends before its header length does; the payload of a header that is longer than
/// the file is empty.
std::string ReportContainer(std::string_view id, unsigned version, std::string_view bytes);
