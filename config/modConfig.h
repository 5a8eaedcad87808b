#pragma once

class clsPropertiesXML;
class clsXMLocalizer;

// The process-wide preferences store and localiser. Start-up creates both and owns them; every
// window reads them through these pointers.
inline clsPropertiesXML* gProperties = nullptr;
inline clsXMLocalizer* gLocalizer = nullptr;
