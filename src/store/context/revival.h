#pragma once

namespace quorlo {

class ManagedObject;
struct Property;

// Whether the property is the user's work on a record: what it says and where it expands, rather than how
// often it was used, when it changed and where it is listed.
bool isContent(const Property& property);

// Whether the unsaved changes of a record that others have deleted bring it back: they change its contents or
// take it out of the trash.
bool revives(const ManagedObject& record);

}  // namespace quorlo
