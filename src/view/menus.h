// The pop-up menus of the drawing window.
#ifndef DLA_VIEW_MENUS_H
#define DLA_VIEW_MENUS_H

// Main menu callback; the function keys F1 to F5 come here too (10 to 14).
void HandleMainMenu(int value);

#endif
