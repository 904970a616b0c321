# Writes a source file that holds a host description as text: cmake -DHOST=FILE -DOUT=FILE -P EmbedHost.cmake
file(READ ${HOST} TEXT)
# A compiler need not take a literal of any length: adjacent pieces are joined by it.
string(LENGTH "${TEXT}" LENGTH)
set(PIECES "")
set(AT 0)
while(AT LESS LENGTH)
    string(SUBSTRING "${TEXT}" ${AT} 8000 PIECE)
    string(APPEND PIECES "R\"host(${PIECE})host\"\n")
    math(EXPR AT "${AT} + 8000")
endwhile()
file(WRITE ${OUT} "#include \"platform/replay/BuiltInHost.h\"\n\nnamespace replay {\n\n"
     "const std::string_view builtInHostText =\n${PIECES};\n\n} // namespace replay\n")
