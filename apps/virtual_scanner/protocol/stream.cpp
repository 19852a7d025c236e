#include "protocol/stream.h"

#include "protocol/gen1_records.h"
#include "protocol/gen2_records.h"

namespace vscan {

const Stream& streamOf(Generation generation) {
  return generation == Generation::First ? gen1::stream() : gen2::stream();
}

}  // namespace vscan
