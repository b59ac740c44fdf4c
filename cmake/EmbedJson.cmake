# Writes the JSON file SOURCE as one C++ string literal to HEADER.
cmake_policy(SET CMP0054 NEW)
file(READ "${SOURCE}" text)
string(JSON kind ERROR_VARIABLE fault TYPE "${text}")
if(fault)
  message(FATAL_ERROR "${SOURCE}: ${fault}")
endif()
# JSON strings hold no raw line feed, so a line feed and the indentation behind it are always layout.
string(REGEX REPLACE "[ \t]*\r?\n[ \t]*" "" text "${text}")
string(REGEX REPLACE "\": " "\":" text "${text}")
file(WRITE "${HEADER}" "R\"json(${text})json\"\n")
