# Writes OUTPUT, the table of all drawings in FOLDER, and the application's own drawing:
# cmake -D FOLDER=… -D ICON=… -D OUTPUT=… -P EmbedSymbols.cmake
file(GLOB drawings "${FOLDER}/*.svg")
list(SORT drawings)
set(rows "")
foreach(drawing IN LISTS drawings)
  get_filename_component(name "${drawing}" NAME)
  # Symbol names have dots, so only the last extension goes.
  string(REGEX REPLACE "\\.svg$" "" name "${name}")
  file(READ "${drawing}" svg)
  string(APPEND rows "    {\"${name}\", R\"svg(${svg})svg\"},\n")
endforeach()
file(READ "${ICON}" icon)
file(WRITE "${OUTPUT}" "#include \"platform/linux/qt/SymbolTable.h\"

namespace qt {
namespace {

constexpr Symbol symbols[] = {
${rows}};

}  // namespace

std::span<const Symbol> symbolTable() { return symbols; }

std::string_view applicationDrawing() { return R\"svg(${icon})svg\"; }

}  // namespace qt
")
