#include "view/menus.h"

#include <stdlib.h>  // exit()

#include "app/records.h"

// For now only the entries the function keys reach without other modules.
void HandleMainMenu(int value) {
  switch (value) {
    case 10:
      options.showextras = !options.showextras;
      break;
    case 11:
      options.showinfo = !options.showinfo;
      break;
    case 12:
      growthstate.growing = !growthstate.growing;
      break;
    case 100:
      exit(0);
  }
}
