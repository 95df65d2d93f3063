# Fails when a text of the application has no German translation: the
# translation sources are brought up to date from the application's sources
# in a copy, and every text lupdate finds there must be translated.
#   cmake -DLUPDATE=... -DSOURCES=<app dir> -DTS=<.ts file> -DWORK=<folder> -P checktranslations.cmake
get_filename_component(name ${TS} NAME)
file(MAKE_DIRECTORY ${WORK})
configure_file(${TS} ${WORK}/${name} COPYONLY)
execute_process(COMMAND ${LUPDATE} -silent -locations none ${SOURCES} -ts ${WORK}/${name}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "lupdate failed: ${out}${err}")
endif()
file(READ ${WORK}/${name} ts)
string(REGEX MATCHALL "<source>[^<]*</source>[^<]*<translation type=\"unfinished\"" missing "${ts}")
string(REGEX MATCHALL "<source>[^<]*</source>[^<]*<translation>[ \t\r\n]*</translation>" empty "${ts}")
list(APPEND missing ${empty})
if(missing)
  list(LENGTH missing count)
  string(REGEX REPLACE "[ \t\r\n]*<translation[^<]*" "" missing "${missing}")
  string(REPLACE ";" "\n" missing "${missing}")
  message(FATAL_ERROR "${count} text(s) without a German translation in ${name}:\n${missing}\n"
                      "Translate them in translations/${name} (see translations/README.md).")
endif()
message(STATUS "every text of ${SOURCES} has a German translation")
