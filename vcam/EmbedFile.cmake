# Writes a C++ source that holds a file's bytes: cmake -DINPUT=.. -DOUTPUT=.. -DNAME=.. -DNAMESPACE=.. -P EmbedFile.cmake
file(READ "${INPUT}" bytes HEX)
string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE "${OUTPUT}"
"#include <cstddef>
namespace ${NAMESPACE} {
extern const unsigned char ${NAME}[];
extern const std::size_t ${NAME}Size;
const unsigned char ${NAME}[] = {
${bytes}
};
const std::size_t ${NAME}Size = sizeof ${NAME};
} // namespace ${NAMESPACE}
")
