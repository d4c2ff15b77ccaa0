# The package playfile: playfile::playfile (the library), playfile::host (what it stands on),
# playfile::store (hosts that keep their state) and playfile::remote (stores on other machines).
# playfile_PLUGIN_DIR is where its plug-ins are.

include("${CMAKE_CURRENT_LIST_DIR}/playfileTargets.cmake")

get_filename_component(playfile_PLUGIN_DIR "${CMAKE_CURRENT_LIST_DIR}/../../playfile/plugins" ABSOLUTE)
