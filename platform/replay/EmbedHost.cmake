# Writes a source file that holds a host description as text: cmake -DHOST=FILE -DOUT=FILE -P EmbedHost.cmake
file(READ ${HOST} DIGITS HEX)
# Byte by byte: a compiler need not take a literal of more than 65,536 characters.
string(REGEX REPLACE "(..)" "'\\\\x\\1'," BYTES "${DIGITS}")
string(REGEX REPLACE "((......,)(......,)(......,)(......,)(......,)(......,)(......,)(......,))" "\\1\n" BYTES "${BYTES}")
file(WRITE ${OUT} "#include \"platform/replay/BuiltInHost.h\"\n\nnamespace replay {\n\n"
     "static const char bytes[] = {\n${BYTES}};\n\n"
     "const std::string_view builtInHostText{bytes, sizeof bytes};\n\n} // namespace replay\n")
