# The API reference: cmake --build --preset release --target docs
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
  set(DOXYGEN_PROJECT_NAME qualityutility)
  set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
  set(DOXYGEN_FILE_PATTERNS *.h)
  set(DOXYGEN_EXCLUDE_PATTERNS *_p.h)
  # Only what has a contract is in the reference, and what has none fails the build. A comment that ends in "@{" speaks
  # for all members up to "@}".
  set(DOXYGEN_EXTRACT_ALL NO)
  set(DOXYGEN_WARN_IF_UNDOCUMENTED YES)
  set(DOXYGEN_DISTRIBUTE_GROUP_DOC YES)
  set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
  set(DOXYGEN_GENERATE_LATEX NO)
  set(DOXYGEN_QUIET YES)
  set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS) # all of them first, not the first one only
  set(DOXYGEN_PREDEFINED Q_OBJECT= Q_SLOTS= "Q_DECLARE_INTERFACE(type,iid)="
    QUALITYUTILITY_EXPORT= SUITE_ACTION_EXPORT= SUITE_COLOUR_EXPORT= SUITE_COMMON_EXPORT=
    SUITE_LOGGING_EXPORT= SUITE_SERIALIZE_EXPORT= SUITE_SERVICE_EXPORT=)
  set(DOXYGEN_MACRO_EXPANSION YES)
  set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
  set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/src)
  doxygen_add_docs(docs src/libs/qualityutility src/suite)
endif()
