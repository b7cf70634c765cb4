-- Spreads the database over the nodes of a Citus cluster, by account. To be run once, after `tarvex-server` has made
-- its tables and before anybody signs up. Not tried: no such cluster was at hand.
--
-- All that an account has lies on one node, and no statement of a request needs two. A login is found by its own key on
-- whichever node that is, so it cannot refer to its account's row there; what is small and common lies on every node.
ALTER TABLE login DROP CONSTRAINT login_account_id_fkey;
SELECT create_distributed_table('account', 'account_id');
SELECT create_distributed_table('area', 'account_id', colocate_with => 'account');
SELECT create_distributed_table('goal_set', 'account_id', colocate_with => 'account');
SELECT create_distributed_table('goal', 'account_id', colocate_with => 'account');
SELECT create_distributed_table('web_session', 'account_id', colocate_with => 'account');
SELECT create_distributed_table('set_progress', 'account_id', colocate_with => 'account');
SELECT create_distributed_table('area_progress', 'account_id', colocate_with => 'account');
SELECT create_distributed_table('login', 'login_digest', colocate_with => 'none');
SELECT create_distributed_table('failure', 'failure_key', colocate_with => 'none');
SELECT create_distributed_table('refused_save', 'saver', colocate_with => 'none');
SELECT create_reference_table('invitation');
SELECT create_reference_table('secret_proof');
