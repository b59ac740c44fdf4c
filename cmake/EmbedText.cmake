# tarvek_embed_json(<target> FILES...)
#
# Carries JSON files in the program. Each NAME.json becomes a header NAME.json.h on the target's private
# include path, which holds nothing but the text as one string literal:
#
#   constexpr char text[] =
#   #include "NAME.json.h"
#       ;
#
# Indentation is left out of the embedded copy; a file that does not parse fails the build.
set(TARVEK_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedJson.cmake)

function(tarvek_embed_json target)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/embedded)
  foreach(file IN LISTS ARGN)
    get_filename_component(name ${file} NAME)
    get_filename_component(source ${file} ABSOLUTE)
    set(header ${folder}/${name}.h)
    add_custom_command(
      OUTPUT ${header}
      COMMAND ${CMAKE_COMMAND} -DSOURCE=${source} -DHEADER=${header} -P ${TARVEK_EMBED_SCRIPT}
      DEPENDS ${source} ${TARVEK_EMBED_SCRIPT}
      COMMENT "Embedding ${name}"
      VERBATIM)
    target_sources(${target} PRIVATE ${header})
  endforeach()
  target_include_directories(${target} PRIVATE ${folder})
endfunction()
