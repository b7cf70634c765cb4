# Which addresses of a service the build takes: cmake -P ServiceUrlTest.cmake
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/ServiceUrl.cmake)

function(expect verdict)
  foreach(url ${ARGN})
    tarvex_service_url_fault("${url}" fault)
    if(NOT fault MATCHES "${verdict}")
      message(SEND_ERROR "${url}: expected '${verdict}', got '${fault}'")
    endif()
  endforeach()
endfunction()

expect("^$" http://127.0.0.1:8717/tarvex/ http://goals.example.org/tarvex/ http://my-host:65535/tarvex/
       "http://[::1]:80/tarvex/")
expect("plain http" https://goals.example.org/tarvex/ ftp://a/tarvex/ //a/tarvex/ a:80 "" " http://a/tarvex/")
expect("query or a fragment" "http://a/tarvex/?" "http://a/tarvex/?x=/tarvex/" "http://a/tarvex/#x")
expect("user name" http://me@a/tarvex/ http://me:you@a:80/tarvex/)
expect("host or port" http:///tarvex/ http://:80/tarvex/ http://a:/tarvex/ http://a:80x/tarvex/ "http://a b/tarvex/"
       http://::1/tarvex/ "http://[::1/tarvex/")
expect("65535" http://a:0/tarvex/ http://a:65536/tarvex/)
expect("path" http://a http://a/ http://a/tarvex http://a/x/tarvex/ http://a/tarvex/x http://a//tarvex/ "http://a/tarvex/ ")
