# Run by the test `package`.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGV}")
    endif()
endfunction()

file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})
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
