# Writes the version script of the shared library from exports.txt: one version node that holds
# the listed names, and everything else local.
function(qxcore_write_linker_script list_file script_file)
  file(STRINGS "${list_file}" names)
  list(JOIN names ";\n    " joined)
  file(CONFIGURE OUTPUT "${script_file}" CONTENT
    "W64QXCORE6_1.0 {\n  global:\n    @joined@;\n  local: *;\n};\n" @ONLY)
endfunction()
