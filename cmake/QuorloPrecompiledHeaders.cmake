# Headers that most files of a kind include, compiled once. Each file still includes what it uses: builds with
# QUORLO_PRECOMPILED_HEADERS=OFF show where one does not.
option(QUORLO_PRECOMPILED_HEADERS "Compile common headers once" ON)

# GoogleTest and the standard library, for every test program.
function(quorlo_precompile_for_tests target)
  if(NOT QUORLO_PRECOMPILED_HEADERS)
    return()
  endif()
  if(NOT TARGET quorlo_test_headers)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}
")
    add_executable(quorlo_test_headers EXCLUDE_FROM_ALL ${CMAKE_BINARY_DIR}/test_headers.cpp)
    quorlo_compile_like_tests(quorlo_test_headers)
    target_link_libraries(quorlo_test_headers PRIVATE GTest::gtest_main GTest::gmock)
    target_precompile_headers(quorlo_test_headers PRIVATE
      <gmock/gmock.h> <gtest/gtest.h> <algorithm> <chrono> <filesystem> <fstream> <functional> <map> <memory>
      <optional> <set> <string> <thread> <variant> <vector>)
  endif()
  target_precompile_headers(${target} REUSE_FROM quorlo_test_headers)
endfunction()

# For a test program of windows, which is compiled in another way.
function(quorlo_precompile_for_window_tests target)
  if(QUORLO_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} PRIVATE <gmock/gmock.h> <gtest/gtest.h> <QtCore> <QtGui> <QtWidgets>)
  endif()
endfunction()

# Qt's windows, for a target that links Qt6::Widgets.
function(quorlo_precompile_qt target)
  if(QUORLO_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} PRIVATE <QtCore> <QtGui> <QtWidgets> <functional> <map> <memory> <optional>
      <string> <vector>)
  endif()
endfunction()
