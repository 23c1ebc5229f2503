# Every target of ours links this: warnings are errors, under both compilers.
add_library(vexalink_warnings INTERFACE)
target_compile_options(
  vexalink_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

# What the sanitizers need is set here, on the same target, so that nothing of ours is built without.
set(VEXALINK_SANITIZE "" CACHE STRING "sanitizers to build with, address,undefined for example")
if(VEXALINK_SANITIZE)
  target_compile_options(
    vexalink_warnings INTERFACE -fsanitize=${VEXALINK_SANITIZE} -fno-sanitize-recover=all
                                -fno-omit-frame-pointer)
  # GCC takes the checks it adds itself for uses (std::regex, std::function), and says so falsely.
  # The build that is shipped keeps the warning.
  target_compile_options(vexalink_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(vexalink_warnings INTERFACE -fsanitize=${VEXALINK_SANITIZE})
endif()
