#pragma once

#include <string>
#include <string_view>

#include "controller/api/ApiContext.h"

namespace controller {

/// What stands in the page of a browser without scripts: today and the days after it, as a plain
/// document at /agenda. It has the style of the page, and asks for nothing else.
std::string AgendaHtml(House& house);

/// A text as it may stand between two tags or in an attribute, on one line.
std::string EscapedHtml(std::string_view text);

void AddAgendaPage(Routes& routes, const SharedContext& api);

}  // namespace controller
