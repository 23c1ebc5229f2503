#pragma once

#include "controller/EventElement.h"
#include "controller/Finding.h"
#include "host/VxXml.h"

namespace controller {

/// What is likely not meant in an event that the scheduler would keep: that it can never occur, or
/// that its time cannot be worked out. `stored` is the event as the scheduler keeps it.
void CheckMeaning(const EventElement& stored, Findings& findings);

/// What of the element `given` is another, or missing, in `stored`, the element that the scheduler
/// answers for it; each with the reason.
void CheckChanges(const VxXML::INode& given, const VxXML::INode& stored, Findings& findings);

}  // namespace controller
