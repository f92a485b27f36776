// Classes by the numbers that drawings have used for their object types.
#pragma once

class OdRxClass;

/// The class of an object type; null for a number without one, and while its library is not loaded.
[[nodiscard]] OdRxClass* oddbDwgClassMapDesc(int type);
