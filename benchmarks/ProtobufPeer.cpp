#include "ProtobufPeer.h"

#include <google/protobuf/compiler/parser.h>
#include <google/protobuf/descriptor.pb.h>
#include <google/protobuf/io/tokenizer.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void Refuse(const std::string& reason) {
  std::fprintf(stderr, "the schema is refused: %s\n", reason.c_str());
  std::exit(1);
}

class ReadErrors final : public google::protobuf::io::ErrorCollector {
  void AddError(int line, int column, const std::string& message) override {
    Refuse(std::to_string(line) + ":" + std::to_string(column) + ": " + message);
  }
};

}  // namespace

const google::protobuf::FileDescriptor* LoadSchema(const std::string& text, google::protobuf::DescriptorPool& pool) {
  google::protobuf::io::ArrayInputStream input(text.data(), static_cast<int>(text.size()));
  ReadErrors errors;
  google::protobuf::io::Tokenizer tokenizer(&input, &errors);
  google::protobuf::compiler::Parser parser;
  parser.RecordErrorsTo(&errors);
  google::protobuf::FileDescriptorProto schema;
  schema.set_name("talc.proto");
  if (!parser.Parse(&tokenizer, &schema)) Refuse("it does not parse");
  const google::protobuf::FileDescriptor* const file = pool.BuildFile(schema);
  if (file == nullptr) Refuse("it does not build");
  return file;
}
