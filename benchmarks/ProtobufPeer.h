#pragma once

#include <google/protobuf/descriptor.h>

#include <string>

/// Loads a schema text and adds it to the pool. Ends the process with a message when the text is refused.
const google::protobuf::FileDescriptor* LoadSchema(const std::string& text, google::protobuf::DescriptorPool& pool);
