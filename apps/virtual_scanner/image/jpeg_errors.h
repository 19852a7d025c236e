// Turns an error of the JPEG library, which must not return to the library, into a jump back to our own code.
#pragma once
#include <csetjmp>
#include <cstddef>
#include <cstdio>

// The library's headers need what is above.
#include <jerror.h>
#include <jpeglib.h>

namespace vscan {

struct JpegErrors {
  jpeg_error_mgr manager{};  // first: the library's pointer to it is our pointer to the whole
  std::jmp_buf jump{};
  char text[JMSG_LENGTH_MAX] = "";
  bool endedEarly = false;

  JpegErrors() {
    jpeg_std_error(&manager);
    manager.error_exit = [](j_common_ptr info) {
      auto* self = reinterpret_cast<JpegErrors*>(info->err);
      info->err->format_message(info, self->text);
      std::longjmp(self->jump, 1);
    };
    // Of the warnings about a damaged file only one matters: the decoder goes on in grey where the file has ended.
    manager.emit_message = [](j_common_ptr info, int) {
      auto* self = reinterpret_cast<JpegErrors*>(info->err);
      self->endedEarly = self->endedEarly || info->err->msg_code == JWRN_JPEG_EOF;
    };
  }
};

}  // namespace vscan
