#pragma once

class Dictionary;

/// Make and read packets: a line of JSON on standard input for each, and its answer on std::cout.

/// {"direction":"request","name":"VPDInfo","values":[["Board","SYMBOL","VPD_Hollen"]]}
/// -> {"ok":true,"packet":"0b0b00068035000000c8"}, {"ok":false,"status":NAME or null} or {"exception":TEXT,"ok":false}
void CompileLines(const Dictionary& dictionary);

/// The packets of a meta command that sends, in their order; nothing is sent.
/// {"name":"LampTable","values":[["Levels","BYTES","0a14"]]}
/// -> {"ok":true,"packets":["0b0b00088002000000000002",...]}, {"ok":false} or {"exception":TEXT,"ok":false}
void MetaLines(const Dictionary& dictionary);

/// {"direction":"request","name":"VPDInfo","reply":"0b0b00058035000000"}, with "values" for what was set before
/// -> {"error":NAME,"ok":true,"status":NAME,"values":[...]} or {"exception":TEXT,"ok":false}
void DecompileLines(const Dictionary& dictionary);
