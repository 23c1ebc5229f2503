#include "controller/HostMessages.h"

namespace controller {

void BindMessage::Release() {
  if (--references_ == 0) delete this;
}

void BindMessage::SetCommand(const char* command, int argument) {
  command_ = command == nullptr ? "" : command;
  argument_ = argument;
}

}  // namespace controller
