# Makes kelprofile(1) from the tool's manual: the title line a man page
# needs, then the manual (plain Markdown), through go-md2man.
#   cmake -DMD2MAN=... -DMANUAL=docs/tool.md -DOUT=kelprofile.1 -P cmake/manpage.cmake
file(READ "${MANUAL}" manual)
file(WRITE "${OUT}.md" "% kelprofile 1\n\n${manual}")
execute_process(COMMAND "${MD2MAN}" -in "${OUT}.md" -out "${OUT}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "go-md2man could not make ${OUT}: ${result}")
endif()
