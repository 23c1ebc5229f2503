#pragma once

/// Marks what the framework's shared library offers to drivers and controllers. Everything else in
/// every library of this system is hidden.
#define VX_API __attribute__((visibility("default")))
