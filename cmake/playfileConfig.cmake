# The package playfile: playfile::playfile (the library), playfile::host (what it stands on) and
# playfile::store (hosts that keep their state). playfile_PLUGIN_DIR is where its plug-ins are.

include("${CMAKE_CURRENT_LIST_DIR}/playfileTargets.cmake")

get_filename_component(playfile_PLUGIN_DIR "${CMAKE_CURRENT_LIST_DIR}/../../playfile/plugins" ABSOLUTE)
