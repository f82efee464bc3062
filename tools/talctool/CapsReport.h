#pragma once

#include <string>

class Dictionary;

/// Reads a capabilities text and reports it on std::cout, a line of JSON for each object:
///
///     {"ok":true,"type":"Trelvane"}
///     {"text":"\n# Generated ..."}
///     {"blockCount":1,"defaultPropertyCount":2}
///     {"conditions":[["VideoInput","VideoInType","VideoInput_SDI",4]],"keyname":"Sdi","properties":[],"values":[]}
///
/// The last line stands for each named block. Of a faulty text there is the first line alone, with the type null, and
/// std::runtime_error is thrown behind it. `path` names the text.
void ReportCapabilities(const Dictionary& dictionary, const std::string& path, const std::string& text);
