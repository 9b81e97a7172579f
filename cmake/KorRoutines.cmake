# Runs the routine generator over every chapter's definition files, and the
# table generator over every chapter's published constants.  It runs
# at configure time; editing a definition or the generator re-runs it.
find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)

set(KOR_GENERATED_DIR ${CMAKE_BINARY_DIR}/generated)
set(KOR_GENERATOR ${CMAKE_SOURCE_DIR}/tools/korgen.py)
set(KOR_CALLBACK_KINDS ${CMAKE_SOURCE_DIR}/frame/callbacks.toml)

# Runs tools/<script> over each file of <chapter>/data matching pattern.
function(kor_generate_tables chapter pattern script)
  file(GLOB tables CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${chapter}/data/${pattern})
  foreach(table IN LISTS tables)
    get_filename_component(stem ${table} NAME_WE)
    set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                 ${table} ${CMAKE_SOURCE_DIR}/tools/${script} ${CMAKE_SOURCE_DIR}/tools/genutil.py)
    execute_process(
      COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tools/${script} ${table}
              ${KOR_GENERATED_DIR}/src/tables/${stem}.hpp kor::data::${stem}
      RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
      message(FATAL_ERROR "${script} failed for ${table}")
    endif()
  endforeach()
endfunction()

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

  # Published constants (<chapter>/data/*.txt, "NAME INDEX VALUE") and
  # tables of integer rows (<chapter>/data/*.rows, "J V1 .. Vc") become
  # headers generated/src/tables/<name>.hpp in namespace kor::data::<name>.
  foreach(chapter IN LISTS ARGN)
    kor_generate_tables(${chapter} "*.txt" tablegen.py)
    kor_generate_tables(${chapter} "*.rows" rowtable.py)
    # The option registry (<chapter>/option_table.txt, one typed row per
    # option) becomes generated/src/tables/option_table.hpp by
    # tools/optiongen.py, which also writes docs/options.md (docs target).
    if(EXISTS ${CMAKE_SOURCE_DIR}/${chapter}/option_table.txt)
      set(option_table ${CMAKE_SOURCE_DIR}/${chapter}/option_table.txt)
      set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                   ${option_table} ${CMAKE_SOURCE_DIR}/tools/optiongen.py)
      execute_process(
        COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tools/optiongen.py ${option_table}
                --header ${KOR_GENERATED_DIR}/src/tables/option_table.hpp
        RESULT_VARIABLE status)
      if(NOT status EQUAL 0)
        message(FATAL_ERROR "option table generation failed for ${option_table}")
      endif()
      set(KOR_OPTION_TABLE ${option_table} PARENT_SCOPE)
    endif()
  endforeach()
  set(KOR_DEFINITIONS ${definitions} PARENT_SCOPE)
  set(KOR_SHELLS ${shells} PARENT_SCOPE)
  set(KOR_CHAPTER_SOURCES_DIRS ${ARGN} PARENT_SCOPE)
endfunction()
