#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/Messages.h"
#include "host/VxXml.h"

namespace controller {

/// One line of a transcript.
using TranscriptLine = nlohmann::ordered_json;

/// How a transcript writes each operation that a driver calls on its host.
namespace transcript {

TranscriptLine RegisterQuery(const char* iid, int result);
TranscriptLine UnregisterQuery(const char* iid);
TranscriptLine AddTimer(unsigned long intervalMilliseconds, unsigned int kind, unsigned long id);
TranscriptLine KillTimer(unsigned long id);
TranscriptLine VmRegisterListener(unsigned long device, unsigned long variable);
TranscriptLine VmUnregisterListener(unsigned long device, unsigned long variable);
TranscriptLine RegisterBinding(unsigned long id, int type, const std::string& name, int result);
TranscriptLine RegisterBindingClass(unsigned long id, const std::string& bindingClass);
TranscriptLine UnregisterBinding(unsigned long id);
TranscriptLine FireEvent(unsigned long id);
TranscriptLine CreateBindMessage();
TranscriptLine SendBoundCall(unsigned long binding, const IBindMessage& message);
TranscriptLine ConSendDataToUI(const VxXML::INode& data);
TranscriptLine DmInvalidateState();
TranscriptLine EmRemoveByOwner(unsigned long owner, int kind);
TranscriptLine LogMessage(unsigned int level, const char* text);
TranscriptLine AssertWrite(const char* file, int line);

/// The line as it stands in a file, without its end.
std::string Text(const TranscriptLine& line);
/// An element as a transcript shows it; null where there is none.
TranscriptLine Shown(const VxXML::INode* node);

}  // namespace transcript

}  // namespace controller
