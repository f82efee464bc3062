#pragma once

#include <exception>
#include <nlohmann/json.hpp>
#include <string>

/// Questions on standard input and answers on std::cout, each a line of JSON.
///
///     AnswerLines([](const Json& question) -> Json { return {{"length", TextMember(question, "text").size()}}; });
using Json = nlohmann::json;

/// Thrown for a question that is not of the form that the call takes.
class BadInput : public std::exception {
 public:
  const char* what() const noexcept override { return "bad input"; }
};

/// The bytes that a text stands for. Throws BadInput when it is no such text.
std::string BytesOf(const Json& text);
/// Each throws BadInput when `object` is no object, has no such member, or holds something else there.
const Json& Member(const Json& object, const char* key);
std::string TextMember(const Json& object, const char* key);

/// Answers every line in order, bad ones with {"error":"bad input"}. Throws std::runtime_error when the input cannot be
/// read to its end.
void AnswerLines(Json (*answer)(const Json& question));
