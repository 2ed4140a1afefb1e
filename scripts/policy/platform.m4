divert(-1)
# What this tree's policy takes from the platform's, reduced to what a check on the host needs: the classes, the
# macros as they are documented to work, the types and attributes that are named, and, in the second file, the rules
# that no HAL may break. The device's own build checks the policy against the platform's.

define(`r_file_perms', `{ getattr open read ioctl lock map }')
define(`w_file_perms', `{ open append write lock map }')
define(`rw_file_perms', `{ r_file_perms w_file_perms }')
define(`create_file_perms', `{ create rename setattr unlink rw_file_perms }')
define(`r_dir_perms', `{ open getattr read search ioctl lock }')
define(`rw_dir_perms', `{ r_dir_perms add_name remove_name write }')
define(`create_dir_perms', `{ create reparent rename rmdir setattr rw_dir_perms }')

# hal_attribute(HAL): the attributes of a HAL's domains, of its clients and of its servers.
define(`hal_attribute', `
attribute hal_$1;
attribute hal_$1_client;
attribute hal_$1_server;
')
# hal_server_domain(DOMAIN, HAL), hal_client_domain(DOMAIN, HAL): the domain serves the HAL, or calls it.
define(`hal_server_domain', `
typeattribute $1 halserverdomain;
typeattribute $1 $2_server;
typeattribute $1 $2;
')
define(`hal_client_domain', `
typeattribute $1 halclientdomain;
typeattribute $1 $2_client;
')
# hal_attribute_hwservice(HAL, SERVICE): clients find the service, servers register it, nobody else does either.
define(`hal_attribute_hwservice', `
allow $1_client $2:hwservice_manager find;
allow $1_server $2:hwservice_manager { add find };
neverallow { domain -$1_server } $2:hwservice_manager add;
neverallow { domain -$1_client -$1_server } $2:hwservice_manager find;
')
# binder_call(CLIENT, SERVER): the client calls the server and hands it objects and descriptors.
define(`binder_call', `
allow $1 $2:binder { call transfer };
allow $2 $1:binder transfer;
allow $1 $2:fd use;
')
# init_daemon_domain(DOMAIN): init starts the file labelled DOMAIN_exec in that domain.
define(`init_daemon_domain', `
allow init $1_exec:file { r_file_perms execute };
allow init $1:process transition;
allow $1 $1_exec:file { r_file_perms execute entrypoint };
type_transition init $1_exec:process $1;
')
divert(0)dnl
class process
class capability
class file
class dir
class lnk_file
class chr_file
class blk_file
class fd
class binder
class hwservice_manager
class tcp_socket
class udp_socket
class rawip_socket
class packet_socket
class netlink_route_socket
class netlink_generic_socket
class unix_stream_socket

sid kernel

common file { ioctl read write create getattr setattr lock append map unlink rename open execute }
common socket { ioctl read write create getattr setattr bind connect listen accept getopt setopt }

class process { fork transition execmem ptrace }
class capability { net_admin net_raw sys_admin sys_module sys_rawio dac_override }
class file inherits file { execute_no_trans entrypoint }
class dir inherits file { add_name remove_name reparent search rmdir }
class lnk_file inherits file
class chr_file inherits file
class blk_file inherits file
class fd { use }
class binder { call transfer impersonate set_context_mgr }
class hwservice_manager { add find list }
class tcp_socket inherits socket
class udp_socket inherits socket
class rawip_socket inherits socket
class packet_socket inherits socket
class netlink_route_socket inherits socket { nlmsg_read nlmsg_write }
class netlink_generic_socket inherits socket
class unix_stream_socket inherits socket { connectto }

sensitivity s0;
dominance { s0 }
category c0;
level s0:c0;
mlsconstrain process transition (h1 dom h2);

attribute domain;
attribute coredomain;
attribute halserverdomain;
attribute halclientdomain;
attribute dev_type;
attribute exec_type;
attribute file_type;
attribute fs_type;
attribute sysfs_type;
attribute vendor_file_type;
attribute core_data_file_type;
attribute hwservice_manager_type;

type kernel, domain, coredomain;
type init, domain, coredomain;
type factory_app, domain;
type device, dev_type;
type binder_device, dev_type;
type sysfs, fs_type, sysfs_type;
type system_data_file, file_type, core_data_file_type;
type mnt_vendor_file, file_type;
type vendor_file, file_type, vendor_file_type;
allow domain self:process fork;
