/* Hosts written in C include the public header as it is. This file fails to
   build when the header stops being plain C. */
#include "kerfline/kerfline.h"

int kerfline_header_is_c(void);
int kerfline_header_is_c(void) {
  KERFLINE_HOST_HOOKS hooks = {0};
  hooks.cbSize = (uint32_t)sizeof(hooks);
  return (int)hooks.cbSize;
}
