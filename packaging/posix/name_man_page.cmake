# cmake -P script: gives a page of help2man, which names it for the program that was run, its own name.
file(READ ${FILE} text)
string(TOUPPER ${PAGE} title)
string(REGEX REPLACE "\n.TH [^ ]+ " "\n.TH ${title} " text "${text}")
string(REGEX REPLACE "\n.SH NAME\n[^\n]+ \\\\- " "\n.SH NAME\n${PAGE} \\\\- " text "${text}")
file(WRITE ${FILE} "${text}")
