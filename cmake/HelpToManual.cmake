# SPDX-License-Identifier: Apache-2.0
#
# A page for man(1) from what a program says of itself: -DPROGRAM=<its file> -DOUTPUT=<the page>.
execute_process(
  COMMAND ${PROGRAM} --help
  OUTPUT_VARIABLE help
  COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(name ${PROGRAM} NAME_WE)
string(REPLACE "${PROGRAM}" "${name}" help "${help}")
string(TOUPPER ${name} title)
string(REGEX MATCH "^[^\n]*" summary "${help}")
string(REGEX REPLACE "\\.$" "" summary "${summary}")
foreach(text IN ITEMS name title summary help)
  string(REPLACE "\\" "\\e" ${text} "${${text}}")
  string(REPLACE "-" "\\-" ${text} "${${text}}")
  string(REPLACE "'" "\\(aq" ${text} "${${text}}")
endforeach()
# A dot at the beginning of a line would be a macro.
string(REPLACE "\n." "\n\\&." help "${help}")
file(WRITE ${OUTPUT} ".TH ${title} 1 \"\" \"\" \"User Commands\"\n.SH NAME\n${name} \\- ${summary}\n"
                     ".SH DESCRIPTION\n.nf\n${help}.fi\n.SH SEE ALSO\n.BR orvane (1)\n")
