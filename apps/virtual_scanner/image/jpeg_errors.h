// Turns an error of the JPEG library, which must not return to the library, into a jump back to our own code.
#pragma once
#include <jpeglib.h>

#include <csetjmp>
#include <cstddef>
#include <cstdio>

namespace vscan {

struct JpegErrors {
  jpeg_error_mgr manager{};  // first: the library's pointer to it is our pointer to the whole
  std::jmp_buf jump{};
  char text[JMSG_LENGTH_MAX] = "";

  JpegErrors() {
    jpeg_std_error(&manager);
    manager.error_exit = [](j_common_ptr info) {
      auto* self = reinterpret_cast<JpegErrors*>(info->err);
      info->err->format_message(info, self->text);
      std::longjmp(self->jump, 1);
    };
    manager.output_message = [](j_common_ptr) {};  // warnings about a damaged file are not worth a line
  }
};

}  // namespace vscan
