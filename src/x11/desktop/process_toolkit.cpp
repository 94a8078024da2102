#include "x11/desktop/process_toolkit.h"

#include <array>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

namespace quorlo {

Toolkit toolkitOfMaps(std::string_view maps) {
  using Library = std::pair<std::string_view, Toolkit>;
  // Programs with an editor of their own use one of the others for their menus, so they come first.
  static constexpr std::array kLibraries{
      Library{"/libxul.so", Toolkit::web},
      Library{"/chrome_100_percent.pak", Toolkit::web},
      Library{"/libQt5WebEngineCore.so", Toolkit::web},
      Library{"/libQt6WebEngineCore.so", Toolkit::web},
      Library{"/libwebkit2gtk-", Toolkit::web},
      Library{"/libswlo.so", Toolkit::libreOffice},
      Library{"/libvcllo.so", Toolkit::libreOffice},
      Library{"/libmergedlo.so", Toolkit::libreOffice},
      Library{"/libQt5Gui.so", Toolkit::qt},
      Library{"/libQt6Gui.so", Toolkit::qt},
      Library{"/libgtk-3.so", Toolkit::gtk},
      Library{"/libgtk-4.so", Toolkit::gtk},
      Library{"/libgtk-x11-2.0.so", Toolkit::gtk},
  };
  for (const auto& [name, toolkit] : kLibraries) {
    if (maps.find(name) != std::string_view::npos) return toolkit;
  }
  return Toolkit::unknown;
}

Toolkit toolkitOfProcess(std::int64_t process) {
  std::ostringstream maps;
  maps << std::ifstream("/proc/" + std::to_string(process) + "/maps").rdbuf();
  return toolkitOfMaps(maps.str());
}

}  // namespace quorlo
