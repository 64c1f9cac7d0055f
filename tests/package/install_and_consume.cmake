# Run by the test `package`.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGV}")
    endif()
endfunction()

file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})
# A panel has this part alone, and may ask for the library by its plain name.
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX} --component runtime)
file(GLOB_RECURSE plain FOLLOW_SYMLINKS ${PREFIX}/libtolvane_link.so)
if(NOT plain)
    message(FATAL_ERROR "no libtolvane_link.so in the component runtime")
endif()
file(GLOB_RECURSE pages ${PREFIX}/*.md)
foreach(page ${pages})
    get_filename_component(folder ${page} DIRECTORY)
    file(READ ${page} text)
    string(REPLACE "](" "link:" text "${text}")
    string(REGEX MATCHALL "link:[^):#]+[)#]" links "${text}")
    foreach(link ${links})
        string(REGEX REPLACE "link:|[)#]" "" target ${link})
        if(NOT EXISTS ${folder}/${target})
            message(FATAL_ERROR "${page} links to ${target}, which is not installed")
        endif()
    endforeach()
endforeach()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${CONSUMER_BUILD} -G Ninja
    -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${CXX_FLAGS})
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD})
run(${CONSUMER_BUILD}/consumer)
# The panel that is installed among the documents, as somebody copies it.
run(${CMAKE_COMMAND} -S ${PREFIX}/share/doc/tolvane-link/examples/panel -B ${CONSUMER_BUILD}/panel
    -G Ninja -DTOLVANE_QT=${QT} -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_CXX_FLAGS=${CXX_FLAGS})
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD}/panel)

file(GLOB pc ${PREFIX}/lib*/pkgconfig/tolvane_link.pc ${PREFIX}/lib/*/pkgconfig/tolvane_link.pc)
foreach(file ${pc} ${PREFIX}/bin/tolvane-plc ${PREFIX}/bin/tolvane-host
        ${PREFIX}/share/man/man1/tolvane-plc.1)
    if(NOT EXISTS ${file})
        message(FATAL_ERROR "not installed: ${file}")
    endif()
endforeach()
if(NOT pc)
    message(FATAL_ERROR "no pkg-config file installed")
endif()
