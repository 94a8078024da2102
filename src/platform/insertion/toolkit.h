#pragma once

namespace quorlo {

// What an application's text fields are made of, which decides how much one press of a key erases or passes.
enum class Toolkit { unknown, gtk, qt, terminal, web, libreOffice };

}  // namespace quorlo
