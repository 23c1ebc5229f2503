# Makes a source file whose function answers a file's text.
# cmake -D INPUT=<file> -D OUTPUT=<source> -D HEADER=<its header> -D FUNCTION=<name> -P EmbedText.cmake
#
# As numbers: compilers need not take a string as long as that.
file(READ ${INPUT} bytes HEX)
string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE ${OUTPUT}
  "#include \"${HEADER}\"\n\nnamespace controller {\n\nnamespace {\n\n"
  "constexpr unsigned char kText[] = {\n${bytes}};\n\n}  // namespace\n\n"
  "std::string_view ${FUNCTION}() {\n"
  "  return {reinterpret_cast<const char*>(kText), sizeof(kText)};\n}\n\n"
  "}  // namespace controller\n")
