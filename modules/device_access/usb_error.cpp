#include "usb_error.h"

#include <libusb.h>

#include <cerrno>

namespace device_access {

int errnoOfUsbCall(int error) {
  switch (error) {
    case LIBUSB_SUCCESS:
      return 0;
    case LIBUSB_ERROR_INVALID_PARAM:
      return EINVAL;
    case LIBUSB_ERROR_ACCESS:
      return EACCES;
    case LIBUSB_ERROR_NO_DEVICE:
      return ENODEV;
    case LIBUSB_ERROR_NOT_FOUND:
      return ENOENT;
    case LIBUSB_ERROR_BUSY:
      return EBUSY;
    case LIBUSB_ERROR_TIMEOUT:
      return ETIMEDOUT;
    case LIBUSB_ERROR_OVERFLOW:
      return EOVERFLOW;
    case LIBUSB_ERROR_PIPE:
      return EPIPE;
    case LIBUSB_ERROR_INTERRUPTED:
      return EINTR;
    case LIBUSB_ERROR_NO_MEM:
      return ENOMEM;
    case LIBUSB_ERROR_NOT_SUPPORTED:
      return ENOSYS;
    default:
      return EIO;
  }
}

int errnoOfTransfer(int status) {
  switch (status) {
    case LIBUSB_TRANSFER_COMPLETED:
      return 0;
    case LIBUSB_TRANSFER_TIMED_OUT:
      return ETIMEDOUT;
    case LIBUSB_TRANSFER_CANCELLED:
      return ECANCELED;
    case LIBUSB_TRANSFER_STALL:
      return EPIPE;
    case LIBUSB_TRANSFER_NO_DEVICE:
      return ENODEV;
    case LIBUSB_TRANSFER_OVERFLOW:
      return EOVERFLOW;
    default:
      return EIO;
  }
}

Outcome usbOpenFailure(int errorNumber) {
  const auto detail = static_cast<std::uint32_t>(errorNumber);
  switch (errorNumber) {
    case ENODEV:
      return {kDeviceAbsent, detail};
    case EBUSY:
      return {kDeviceBusy, detail};
    case EACCES:
      return {kNoPermission, detail};
    case ENOMEM:
      return {kNoResource, detail};
    default:
      return {kConnectFailed, detail};
  }
}

}  // namespace device_access
