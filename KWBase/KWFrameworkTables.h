#pragma once

class KWBundle;

/// Adds the tables under Resources, in every language; its source is made from them by
/// cmake/EmbedTables.cmake.
void KWAddFrameworkTables(KWBundle& bundle);
