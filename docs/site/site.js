// SPDX-License-Identifier: Apache-2.0
//
// What the theme does on every page.
DoxygenAwesomeDarkModeToggle.init();
DoxygenAwesomeFragmentCopyButton.init();
DoxygenAwesomeParagraphLink.init();
