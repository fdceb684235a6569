# velhal_delay_load(target dll...): target binds the named system DLLs on first use instead of
# at its own load, so loading it costs only the DLLs every host has anyway. With MinGW a
# delay-load import library is made from the toolchain's import library (its __imp_ symbols
# as a .def, through dlltool) and linked ahead of the ordinary one.
function(velhal_delay_load target)
  if(MSVC)
    foreach(dll IN LISTS ARGN)
      target_link_options(${target} PRIVATE /DELAYLOAD:${dll}.dll)
    endforeach()
    target_link_libraries(${target} PRIVATE delayimp)
    return()
  endif()
  find_program(VELHAL_DLLTOOL NAMES x86_64-w64-mingw32-dlltool dlltool REQUIRED)
  set(out ${CMAKE_BINARY_DIR}/lib/delay)
  file(MAKE_DIRECTORY ${out})
  foreach(dll IN LISTS ARGN)
    find_library(velhal_import_${dll} NAMES ${dll} REQUIRED)
    execute_process(COMMAND ${CMAKE_NM} ${velhal_import_${dll}}
                    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL " I __imp_[A-Za-z0-9_]+" imports "${symbols}")
    list(REMOVE_DUPLICATES imports)
    list(TRANSFORM imports REPLACE " I __imp_" "")
    list(JOIN imports "\n" exports)
    # Rewritten only when different, and the library remade only then: a reconfigure alone
    # does not relink the DLL.
    file(WRITE ${out}/${dll}.def.new "LIBRARY ${dll}.dll\nEXPORTS\n${exports}\n")
    file(COPY_FILE ${out}/${dll}.def.new ${out}/${dll}.def ONLY_IF_DIFFERENT)
    file(REMOVE ${out}/${dll}.def.new)
    if(NOT EXISTS ${out}/lib${dll}.delay.a OR ${out}/${dll}.def IS_NEWER_THAN ${out}/lib${dll}.delay.a)
      execute_process(COMMAND ${VELHAL_DLLTOOL} --input-def ${out}/${dll}.def --dllname ${dll}.dll
                              --output-delaylib ${out}/lib${dll}.delay.a
                      COMMAND_ERROR_IS_FATAL ANY)
    endif()
    target_link_libraries(${target} PRIVATE ${out}/lib${dll}.delay.a)
  endforeach()
endfunction()
