#include <stdio.h>

#include "zolvex_m.h"

int main(void) {
    double x[3] = {1.0, 2.0, 3.0};
    double out[3];
    zolvex_m_init();
    zolvex_m_mulc_addc_f64(x, out, 3, 2.0, 1.0);
    zolvex_m_fini();
    if (out[0] != 3.0 || out[1] != 5.0 || out[2] != 7.0) return 1;
    printf("consumer ok: %s\n", zolvex_m_status_str(0));
    return 0;
}
