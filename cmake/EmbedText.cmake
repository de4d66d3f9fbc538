# Writes OUTPUT, a C++ source that defines lotrix::VARIABLE as the text of INPUT.
file(READ ${INPUT} text)
file(WRITE ${OUTPUT}.tmp
     "#include <string_view>\n\nnamespace lotrix {\nextern const std::string_view ${VARIABLE};\nconst std::string_view ${VARIABLE} = R\"embedded(${text})embedded\";\n}\n")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
