cmake_policy(VERSION 3.25)
# The README's C example must be the file the test command builds and runs,
# character for character, so that it compiles as printed.
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```c\n${example}```\n" at)
if(at EQUAL -1)
  message(FATAL_ERROR "README.md's ```c block is not ${EXAMPLE} verbatim")
endif()
