# framework_utility_write_exports(<file>): the shared library's version script. It exports what an
# app can name, derive from or catch: the library's own namespace less its inner one, `detail`.
#
# By mangled names, in which each name follows its length: so what begins with "6detail" is of the
# inner namespace and nothing else is, and an overrider's thunk begins as its function does. Of two
# wildcards that match, the linker takes the global one, so the inner namespace is not hidden by a
# local one but left out: what is exported begins as it does and then goes on differently.

function(framework_utility_write_exports file)
  set(inner 6detail)
  string(LENGTH ${inner} last)
  math(EXPR last "${last} - 1")
  set(patterns "")
  foreach(kind IN ITEMS
      _Z _ZZ _ZGV _ZGVZ          # functions, their static variables, the guards of both
      _ZTV _ZTT _ZTC _ZTI _ZTS   # of classes: tables, those while under construction, type info
      _ZTh*_ _ZTv*_ _ZTc*_       # thunks: non-virtual, virtual, of covariant results
      _ZNSt4hashI _ZNKSt4hashI)  # hashes of the library's types
    foreach(qualifier IN ITEMS "" K R O KR KO)  # const, & and &&
      set(begin ${kind}N${qualifier}16FrameworkUtility)
      foreach(same RANGE ${last})
        string(SUBSTRING ${inner} 0 ${same} shared)
        string(SUBSTRING ${inner} ${same} 1 next)
        string(APPEND patterns "    ${begin}${shared}[!${next}]*;\n")
      endforeach()
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "{\n  global:\n@patterns@  local:\n    *;\n};\n" @ONLY)
endfunction()
