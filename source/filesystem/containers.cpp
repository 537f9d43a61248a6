// Every container the library names, instantiated whole: a member that does not work
// for one of these types fails here, at the library's build, not in a caller's.
#include "ovra/ovContainers.h"

template class coDynArr<ovString>;
template class coDList<ovString>;
template class coDListCursor<ovString>;
template class coSet<ovString, ovStringLess>;
template class coTable<ovString, ovString, ovStringLess>;
template class coPageArr<ovString>;

template class coDynArr<ovPath>;
template class coDList<ovPath>;
template class coDListCursor<ovPath>;
template class coSet<ovPath, ovPathLess>;

template class coDynArr<ovFileName>;
template class coDList<ovFileName>;
template class coSet<ovFileName, ovPathLess>;

template class coDynArr<ovStringFormatSpecifier>;
template class coPageArr<ovStringFormatSpecifier>;
