# cmake -DOUTPUT=<file> "-DASSETS=<name>=<path>|..." -P embed.cmake
# Writes files into a source as arrays of bytes, with the function that lists them.
string(REPLACE "|" ";" assets "${ASSETS}")
set(arrays "")
set(rows "")
set(index 0)
foreach(asset ${assets})
    string(REGEX MATCH "^([^=]*)=(.*)$" match "${asset}")
    set(name "${CMAKE_MATCH_1}")
    file(READ "${CMAKE_MATCH_2}" bytes HEX)
    string(LENGTH "${bytes}" digits)
    math(EXPR size "${digits} / 2")
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    # A byte behind the last: a file may be empty.
    string(APPEND arrays "constexpr char kAsset${index}[] = {${bytes}'\\0'};\n")
    string(APPEND rows "        {\"/${name}\", {kAsset${index}, ${size}}},\n")
    math(EXPR index "${index} + 1")
endforeach()
file(WRITE "${OUTPUT}.new" "#include \"tools/kvx2800t/panel/assets.h\"

namespace panel
{
namespace
{

${arrays}
} // namespace

const std::vector<Asset>& assets()
{
    static const std::vector<Asset> all = {
${rows}    };
    return all;
}

} // namespace panel
")
file(RENAME "${OUTPUT}.new" "${OUTPUT}")
