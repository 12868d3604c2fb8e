# vintra_flags: how everything of this project is compiled and linked. Never passed on to a host's own targets.
add_library(vintra_flags INTERFACE)

target_compile_options(vintra_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-align -Wformat=2 -Wundef -Wvla
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wextra-semi>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes -Wmissing-prototypes>
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
# Everything is bound at start-up, so calls need not go through the linkage table: some 5% of a record.
target_compile_options(vintra_flags INTERFACE -fno-plt)
# Files of 2 GiB and more are told apart from small ones on 32-bit machines too, and days of after 2038 from the past.
target_compile_definitions(vintra_flags INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
if(VINTRA_WARNINGS_AS_ERRORS)
  target_compile_options(vintra_flags INTERFACE -Werror)
endif()

if(VINTRA_SANITIZE)
  target_compile_options(vintra_flags INTERFACE -fsanitize=${VINTRA_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(vintra_flags INTERFACE -fsanitize=${VINTRA_SANITIZE})
elseif(VINTRA_HARDEN)
  target_compile_options(vintra_flags INTERFACE -fstack-protector-strong
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
  target_link_options(vintra_flags INTERFACE -Wl,-z,relro -Wl,-z,now)
  # Programs lie at another address each time, whatever the compiler's own choice is.
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
