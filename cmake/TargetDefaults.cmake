# What every target of ours is compiled with.

# rk_target_defaults(<target>)
#   C++17, hidden symbols, warnings as errors, strict Qt strings; none of it is asked of those who link the target.
function(rk_target_defaults target)
  target_compile_features(${target} PRIVATE cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_definitions(${target} PRIVATE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_KEYWORDS
    QT_NO_FOREACH
    QT_STRICT_ITERATORS
    QT_DEPRECATED_WARNINGS
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX /utf-8 /permissive-)
  else()
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
      -Wold-style-cast -Wcast-qual -Werror)
    # Qt's qCDebug leaves its variadic argument out, as C++20 allows.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>)
  endif()
endfunction()
