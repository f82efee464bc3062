#include "StatementLines.h"

#include <algorithm>
#include <locale>
#include <sstream>
#include <string_view>

#include "Dictionary.h"
#include "JsonLines.h"
#include "JsonValues.h"
#include "support/JsonText.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcCommand;

/// Writes a fixed word for every pointer. So what a stream writes as a pointer is told from text that looks like one,
/// which no search through the written text can do.
class PointersAsWord : public std::num_put<char> {
 protected:
  using std::num_put<char>::do_put;
  iter_type do_put(iter_type out, std::ios_base&, char_type, const void*) const override {
    constexpr std::string_view kWord = "<ptr>";
    return std::copy(kWord.begin(), kWord.end(), out);
  }
};

std::string Written(const TalcCommand& command) {
  std::ostringstream stream;
  // The locale owns its facet.
  stream.imbue(std::locale(stream.getloc(), new PointersAsWord));
  stream << command;
  return stream.str();
}

Json AnswerStatement(const Json& question) {
  TalcCommand command;
  SetDirection(command, question);
  std::istringstream statement(TextMember(question, "statement"));
  statement >> command;
  return {
      {"name", Latin1Text(command.GetName())}, {"values", ValuesOf(command)}, {"text", Latin1Text(Written(command))}};
}

}  // namespace

void StatementLines(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  AnswerLines(AnswerStatement);
}
