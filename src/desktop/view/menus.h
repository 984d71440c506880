// The pop-up menus of the drawing window (right mouse button).
#ifndef DLA_DESKTOP_VIEW_MENUS_H
#define DLA_DESKTOP_VIEW_MENUS_H

// Builds the menu tree once, after the window exists, and attaches the main
// menu to the right button.
void CreateMenus(void);

// Menu callbacks. The function keys F1 to F5 come to HandleMainMenu too (10
// to 14), the quit keys do what its 100 does.
void HandleMainMenu(int value);
void HandleSaveMenu(int value);
void HandleDLAMenu(int value);
void HandleSTLMenu(int value);
void HandleSourceMenu(int value);
void HandleRootMenu(int value);
void HandleSampleMenu(int value);

#endif
