// What every new drawing holds.
#pragma once

class OdDbDatabase;

/// Makes the tables, layer "0", the line types "ByBlock", "ByLayer" and "Continuous", model space,
/// paper space and the named objects dictionary, at the handles of OdDbRootHandles. What is there
/// already, in a drawing that was recovered, stays. The database does not record undo.
void oddbMakeDefaultContent(OdDbDatabase* database);
