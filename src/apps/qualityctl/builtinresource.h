#pragma once

class PicQualityResource;

/// The library's resource object for commands that need its gray tables or its settings, and none of the user's data
/// folder. That folder is a running host's: the object's start would delete the files there that the host is handing
/// over. So the object is told of a folder that cannot be made, whatever the environment says, and changes nothing on
/// disk. Made at the first call.
PicQualityResource& builtInResource();
