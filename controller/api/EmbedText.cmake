# Makes a source file whose function answers a file's text.
# cmake -D INPUT=<file> -D OUTPUT=<source> -D HEADER=<its header> -D FUNCTION=<name> -P EmbedText.cmake
file(READ ${INPUT} text)
# A raw string ends at the first )text", so that must not be in it.
string(FIND "${text}" ")text\"" end)
if(NOT end EQUAL -1)
  message(FATAL_ERROR "${INPUT} holds )text\", which a raw string cannot")
endif()
file(WRITE ${OUTPUT}
  "#include \"${HEADER}\"\n\nnamespace controller {\n\nstd::string_view ${FUNCTION}() {\n"
  "  static constexpr std::string_view kText = R\"text(${text})text\";\n  return kText;\n}\n\n"
  "}  // namespace controller\n")
