#pragma once

namespace controller {

/// The table of those who may come in from elsewhere; part of the project's schema.
constexpr const char* kTokenSchema = R"sql(
CREATE TABLE token (
  name TEXT PRIMARY KEY,
  hash TEXT NOT NULL UNIQUE,  -- SHA-256 of the token, in hexadecimal digits; itself it is not kept
  role TEXT NOT NULL,         -- view, operate, edit
  created INTEGER NOT NULL    -- seconds since the epoch
) STRICT;
)sql";

}  // namespace controller
