# Runs the routine generator over every chapter's definition files.  It runs
# at configure time; editing a definition or the generator re-runs it.
find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)

set(KOR_GENERATED_DIR ${CMAKE_BINARY_DIR}/generated)
set(KOR_GENERATOR ${CMAKE_SOURCE_DIR}/tools/korgen.py)
set(KOR_CALLBACK_KINDS ${CMAKE_SOURCE_DIR}/frame/callbacks.toml)

function(kor_generate_routines)
  set(definitions)
  foreach(chapter IN LISTS ARGN)
    file(GLOB found CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${chapter}/*.toml)
    list(REMOVE_ITEM found ${KOR_CALLBACK_KINDS})
    list(APPEND definitions ${found})
  endforeach()
  set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
               ${definitions} ${KOR_GENERATOR} ${KOR_CALLBACK_KINDS})
  execute_process(
    COMMAND ${Python3_EXECUTABLE} ${KOR_GENERATOR} --kinds ${KOR_CALLBACK_KINDS}
            --out ${KOR_GENERATED_DIR} ${definitions}
    RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "routine generation failed")
  endif()
  file(STRINGS ${KOR_GENERATED_DIR}/shells.txt shells)
  set(KOR_DEFINITIONS ${definitions} PARENT_SCOPE)
  set(KOR_SHELLS ${shells} PARENT_SCOPE)
  set(KOR_CHAPTER_SOURCES_DIRS ${ARGN} PARENT_SCOPE)
endfunction()
