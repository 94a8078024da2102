#pragma once

namespace quorlo {

class QLSnippet;
struct RunningApplication;

// Whether the snippet's folder lets it expand in the application. Applications are compared by bundle
// identifier, exactly. Without an application, an identifier or a folder nothing forbids it.
bool folderAllowsExpansion(const QLSnippet& snippet, const RunningApplication* target);

}  // namespace quorlo
