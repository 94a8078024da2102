// quorlo-keyboard-guard DISPLAY WINDOW ATOM
//
// Frees the keyboards from a Quorlo that hangs (see KeyboardGuard). Standard input is a socket: the number of
// the guard's window is written to it (4 bytes) when the guard sees keys, and its other end is closed when
// Quorlo ends.

#include "x11/guard/keyboard_guard.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("Started by Quorlo only. Usage: quorlo-keyboard-guard DISPLAY WINDOW ATOM\n", stderr);
    return 2;
  }
  xcb_connection_t* const connection = xcb_connect(argv[1], nullptr);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return 1;
  }
  {
    quorlo::KeyboardGuard guard(connection, static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 10)),
                                static_cast<xcb_atom_t>(std::strtoul(argv[3], nullptr, 10)), STDIN_FILENO);
    const bool isReady = guard.begin();
    const auto window = guard.window();
    if (isReady && write(STDIN_FILENO, &window, sizeof window) == sizeof window) guard.run();
  }
  xcb_disconnect(connection);
  return 0;
}
