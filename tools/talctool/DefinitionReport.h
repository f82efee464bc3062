#pragma once

class Dictionary;

/// Report the dictionary on std::cout, a line of JSON for each object.

/// What each source and each command turned out to be. The sources are told even when no command is defined.
///
///     {"file":"a.tcd","ok":true}
///     {"function":26,"kind":"Talc","major":"SYSTEM","minor":0,"name":"VPDInfo",...}
///
/// What a command's kind does not have is null.
void Check(const Dictionary& dictionary);

/// What is wrong with each command:
///
///     {"errors":["Command Name is invalid"],"name":"a-b"}
void Validate(const Dictionary& dictionary);
