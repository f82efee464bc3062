#include "LogLines.h"

#include <iostream>

#include "dictionary/Log.h"
#include "talcpath.h"

LogLines::LogLines(Detail detail) {
  TalcPath::TalcPathSetLogStream(&stream_);
  // The library's own switch has no setting for verbose lines alone that would leave the trace as it is.
  TalcPathPrivate::logState.verbose = detail != Detail::kFaults;
  TalcPathPrivate::logState.trace = detail == Detail::kTrace;
}

LogLines::~LogLines() {
  if (isLineOpen_) std::cerr.put('\n');
  TalcPath::TalcPathSetLogStream(nullptr);
}

LogLines::int_type LogLines::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  const char c = traits_type::to_char_type(character);
  return xsputn(&c, 1) == 1 ? character : traits_type::eof();
}

std::streamsize LogLines::xsputn(const char* text, std::streamsize length) {
  if (length <= 0) return 0;
  isLineOpen_ = text[length - 1] != '\n';
  return std::cerr.write(text, length) ? length : 0;
}
