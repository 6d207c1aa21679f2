# Writes the header OUTPUT with the commit that the program is built from, empty for a release: what the tag vVERSION
# names, unchanged, or sources without their history. cmake -D VERSION=… -D SOURCE=… -D OUTPUT=… -P Commit.cmake
cmake_minimum_required(VERSION 3.25)

function(git result)
  execute_process(COMMAND git -C ${SOURCE} ${ARGN} OUTPUT_VARIABLE output RESULT_VARIABLE status ERROR_QUIET
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0)
    set(output "")
  endif()
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

set(commit "")
if(EXISTS ${SOURCE}/.git)
  git(tag describe --tags --exact-match --match v${VERSION} --dirty)
  if(NOT tag STREQUAL v${VERSION})
    git(commit describe --always --dirty --abbrev=10 --exclude=*)
  endif()
endif()
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "inline constexpr const char* builtFromCommit = \"@commit@\";\n" @ONLY)
