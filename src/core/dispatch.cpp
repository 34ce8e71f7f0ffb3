#include "core/options.h"
#include "elementwise/abs.h"
#include "elementwise/convert.h"
#include "elementwise/shr_clip.h"

namespace core {

void choose_dispatch_tables() noexcept {
    elementwise::choose_abs_kernels();
    elementwise::choose_convert_kernels();
    elementwise::choose_shr_clip_kernels();
}

} // namespace core
